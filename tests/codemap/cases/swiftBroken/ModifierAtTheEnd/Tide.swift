struct A {
    private
}
let b = 1
