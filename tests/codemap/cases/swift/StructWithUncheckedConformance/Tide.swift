struct Tide: @unchecked Sendable, Codable {}
