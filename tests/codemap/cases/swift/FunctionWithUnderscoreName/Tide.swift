func _a() {}
func __b(_c: Int) {}
func _() {}
