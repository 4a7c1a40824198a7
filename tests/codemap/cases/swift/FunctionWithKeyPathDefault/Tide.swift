func a(b: KeyPath<A, Int> = \.c, d: Int = 0) {}
