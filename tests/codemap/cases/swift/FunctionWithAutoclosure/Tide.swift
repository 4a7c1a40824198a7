func a(_ b: @autoclosure () -> Bool, c: @autoclosure @escaping () throws -> Int = 1) {}
