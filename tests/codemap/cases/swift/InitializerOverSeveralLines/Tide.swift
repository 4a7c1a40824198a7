class A {
    required
    convenience init?(
        b: Int,
        c: Int
    ) {
        self.init()
    }
}
