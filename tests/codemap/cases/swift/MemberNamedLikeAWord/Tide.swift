struct A {
    var rule: Rule = .any

    init(a: Int) {}
    let other = Kind.some
    func f() {}
    let more = x.try
    func g() {}
}
