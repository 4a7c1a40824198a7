struct A {
    let b: Dictionary<String, Array<Set<Int>>>, c: Int
    var d: Optional<(Int) -> Void> = nil
    let e: A.B<Int>.C
}
