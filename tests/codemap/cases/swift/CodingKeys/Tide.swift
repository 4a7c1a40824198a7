struct A: Codable {
    let a: Int
    private enum CodingKeys: String, CodingKey {
        case a = "A", b = "B"
    }
    init(from decoder: Decoder) throws {
        let c = try decoder.container(keyedBy: CodingKeys.self)
        a = try c.decode(Int.self, forKey: .a)
    }
}
