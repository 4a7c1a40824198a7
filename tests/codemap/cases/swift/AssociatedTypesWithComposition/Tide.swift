protocol A {
    associatedtype B: C & D
    associatedtype E: Collection<Int> = [Int]
}
