func `default`() {}
func `init`(`in`: Int) {}
class `Type` {}
let `let` = 1
