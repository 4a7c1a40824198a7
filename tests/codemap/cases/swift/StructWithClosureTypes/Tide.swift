struct A {
    let a: () -> Void
    let b: (Int, String) -> (Bool) -> Int
    var c: ((Int) -> Void)?
    let d: @Sendable () async throws -> Void = {}
}
