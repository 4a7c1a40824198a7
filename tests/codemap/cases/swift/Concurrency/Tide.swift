@MainActor final class A {
    nonisolated func a() {}
    @Sendable func b() async {}
    isolated deinit {}
    nonisolated(unsafe) var c = 1
    func d() async throws -> AsyncStream<Int> { .init { c in let x = 1 } }
    async let e = 1
}
