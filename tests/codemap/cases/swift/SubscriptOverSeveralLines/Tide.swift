struct A {
    subscript(
        b: Int,
        c d: Int
    ) -> Int
    {
        get { 1 }
    }
    let e = 1
}
