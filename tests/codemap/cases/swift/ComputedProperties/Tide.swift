struct Tide {
    var a: Int { 1 }
    var b: Int {
        get { return 1 }
        set { let x = newValue }
    }
    var c: Int { get async throws { 1 } }
    class var d: Int { return 2 }
    static var e: Int {
        if let f = g { return f }
        return 1
    }
}
