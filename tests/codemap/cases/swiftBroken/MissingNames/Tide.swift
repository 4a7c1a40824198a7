func
class
struct A {
    var
    let
    func f() {}
}
