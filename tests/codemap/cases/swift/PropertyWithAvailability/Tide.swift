struct A {
    @available(iOS, deprecated: 13, renamed: "c(d:)") var b: Int { 1 }
    @available(*, unavailable)
    var e: Int { fatalError() }
}
