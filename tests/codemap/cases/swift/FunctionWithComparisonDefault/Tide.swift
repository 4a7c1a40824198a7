func a(b: Bool = 1 < 2, c: Int = 3 > 2 ? 1 : 0, d: Int) {}
