struct A {
    let a = 1_000, b = 0xFF, c = 0b11, d = 1.5e-3, e = -1, f = 0x1.8p3
    let g = 1...5, h = 0..<3, i = 2...
}
