let a = """
    class A {
    "quotes" and ""two""
    \(b) func c() {
    """
let d = 1
