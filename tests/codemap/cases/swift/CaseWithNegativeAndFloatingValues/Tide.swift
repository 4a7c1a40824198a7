enum A: Double {
    case a = -1.5, b = 1e3, c = 0x1p4
}
