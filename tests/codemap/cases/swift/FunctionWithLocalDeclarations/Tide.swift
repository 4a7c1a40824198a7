func outer() {
    let a = 1
    var b: Int { 2 }
    func inner() {}
    class Local { func deep() {} }
    enum E { case x }
    struct S {}
    typealias T = Int
    if let c = d { let e = 1 }
}
let after = 1
