struct A {
    let a = "\(b.map { "}" }) {"
    let c = "\(d["}"] ?? "\(e(")"))") }"
    func f() { print("\(g { h in "\(h) {" })") }
    let i = "(\(j))"
}
