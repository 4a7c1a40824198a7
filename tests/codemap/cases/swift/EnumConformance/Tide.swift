enum A: Int, Codable, Comparable {
    static func < (a: A, b: A) -> Bool { a.rawValue < b.rawValue }
    case a = 1
}
