func a(_ b: inout Int, c: inout [String: Int]) {}
