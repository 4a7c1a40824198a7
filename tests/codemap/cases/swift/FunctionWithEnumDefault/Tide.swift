func a(b: B = .c, d: E = .f(g: 1), h: I? = .none) {}
