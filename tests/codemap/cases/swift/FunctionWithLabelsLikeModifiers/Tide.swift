func a(open b: Int, static c: Int, override: Int, some d: Int, any: Int) {}
