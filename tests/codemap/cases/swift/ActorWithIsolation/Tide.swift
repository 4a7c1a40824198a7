actor A {
    private var b = 0
    nonisolated var c: Int { 1 }
    func d() async -> Int { b }
}
