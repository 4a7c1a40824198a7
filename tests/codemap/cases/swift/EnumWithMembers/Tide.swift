enum Side {
    case left, right
    var opposite: Side {
        switch self {
        case .left: return .right
        case .right: return .left
        }
    }
    static func random() -> Side { .left }
    init?(text: String) { return nil }
}
