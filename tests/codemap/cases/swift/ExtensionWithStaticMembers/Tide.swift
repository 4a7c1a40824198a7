extension A {
    static let b = 1
    static var c: Int { 2 }
    static func d() {}
    convenience init(e: Int) { self.init() }
}
