protocol Sorted: Collection where Element: Comparable, Index == Int {
    func sorted() -> Self
}
