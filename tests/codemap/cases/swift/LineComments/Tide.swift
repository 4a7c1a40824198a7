// class A {}
let a = 1 // func f() {
/// struct B {
// }
let b = 2
