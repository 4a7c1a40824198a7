struct A {
    let a = 1

struct B {
    let b = 2
}
func c() {}
