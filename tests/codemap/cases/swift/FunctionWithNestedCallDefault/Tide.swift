func a(b: Int = f(g(1, 2), h: 3), c: Int = [1, 2][0], d: Int = -1) {}
