extension Tide: Equatable, Codable {
    static func == (left: Tide, right: Tide) -> Bool { true }
}
