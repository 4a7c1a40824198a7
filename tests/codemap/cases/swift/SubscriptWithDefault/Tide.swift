struct A {
    subscript(b: Int, default c: @autoclosure () -> Int = 1) -> Int { c() }
    class subscript(d: Int) -> Int { 1 }
}
