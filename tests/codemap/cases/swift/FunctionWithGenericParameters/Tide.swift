func move(table: Dictionary<String, [Int]>, to other: Result<Int, Error>, by: Int) {}
