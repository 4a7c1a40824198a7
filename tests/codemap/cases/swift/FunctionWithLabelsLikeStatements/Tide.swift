func a(if b: Int, while: Int, in c: Int, as d: Int, is: Int, where e: Int) {}
