enum Level: Int, CaseIterable {
    case low = -1, middle
    case high = 0x10
}
enum Name: String {
    case a = "case b, c", d = "}"
}
