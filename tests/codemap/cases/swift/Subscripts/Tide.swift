struct Table {
    subscript(row: Int) -> Int { 1 }
    subscript(row row: Int, column: Int) -> Int {
        get { 1 }
        set(value) { let a = value }
    }
    static subscript<T>(dynamicMember path: KeyPath<Tide, T>) -> T { fatalError() }
    subscript(_ i: Int, safe other: Int) -> Int? { nil }
}
