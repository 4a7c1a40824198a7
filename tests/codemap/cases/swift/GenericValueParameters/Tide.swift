struct Vector<let N: Int, Element: ~Copyable>: ~Copyable where Element: Sendable {
    let a: InlineArray<3, Int>
}
