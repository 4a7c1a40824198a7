struct Registry {
    var country: Country?
    public var entries: [Country: Entry]
    private let geometry: Geometry?
    static var shared: Registry?
    func entry() -> Entry?
    func value() throws -> Int { try? retry() ?? 0 }
    let parsed = try?
        parse()
    let last: Int
}
