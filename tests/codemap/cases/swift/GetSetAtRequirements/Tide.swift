protocol A {
    var a: Int { get set }
    var b: Int { get async throws }
    var c: Int { mutating get nonmutating set }
    static subscript(x: Int) -> Int { get }
}
