struct A {
    let a = "{"
    let b = "}}}"
    func f() { print("}") ; print("{ \" } {") }
    let c = "\\"
    let d = "\""
}
let e = 1
