func a(file: String = #file, line: Int = #line, b: StaticString = #function) {}
