func a(b: String = "x, y: Int", c: String = ")", d: Character = "\"") {}
