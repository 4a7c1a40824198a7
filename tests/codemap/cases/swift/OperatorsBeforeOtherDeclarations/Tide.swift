infix operator +|
infix operator +-

extension Point {
    static func +| (left: Point, right: Point) -> Point { left }
}
