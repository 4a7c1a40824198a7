actor Harbour: Place {
    nonisolated let name: String
    nonisolated func describe() -> String { name }
    func moor(ship: Ship) async {}
}
