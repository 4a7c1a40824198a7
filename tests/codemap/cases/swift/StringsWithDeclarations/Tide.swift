let a = "class B { func c() {} }"
let d = "\n func e() {}"
