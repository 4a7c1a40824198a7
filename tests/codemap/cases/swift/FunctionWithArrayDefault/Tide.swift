func a(b: [Int] = [1, 2, 3], c: [String: Int] = ["x": 1, "y": 2]) {}
