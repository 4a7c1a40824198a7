func a(_ b: (x: Int, y: Int), c: [(Int, String)]) {}
