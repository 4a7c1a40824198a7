func a() {}
func b(x: Int) {}
func c(_ x: Int) {}
func d(x y: Int) {}
func e(_ x: Int, y: Int, z w: Int) {}
func f(for: Int, in x: Int, _: Int, `default` d: Int) {}
