func draw(color: Color = .init(red: 1, green: 2), rect: Rect = Rect(x: 0, y: 0), flags: Set<Flag> = Set<Flag>(), names: [String] = ["a", "b"], ratio: Double = a < b ? 1 : 2) {}
