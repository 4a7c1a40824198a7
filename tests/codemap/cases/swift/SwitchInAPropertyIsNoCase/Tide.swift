enum Tide {
    case low
    var text: String {
        switch self {
        case .low where true: "low"
        default: "case x"
        }
    }
    case high
}
