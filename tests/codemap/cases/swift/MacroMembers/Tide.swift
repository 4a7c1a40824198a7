@Observable class A {
    @ObservationIgnored private var b = 1
    #expect(c == "}")
    var d: Int { #e { let f = 1 } }
}
