struct A {
    private
    static
    let b
        : Int
        = 1
    let c = 2
}
