func ==<T: Equatable>(left: T, right: T) -> Bool { true }
func < <T>(left: T, right: T) -> Bool { true }
func <<<T>(left: T, right: Int) -> T { left }
func ~= <T>(pattern: T, value: T) -> Bool { true }
func >>> <A, B>(left: A, right: B) {}
