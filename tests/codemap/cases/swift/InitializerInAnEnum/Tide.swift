enum A: Int {
    case b
    init() { self = .b }
    init?(_ c: String) { nil }
}
