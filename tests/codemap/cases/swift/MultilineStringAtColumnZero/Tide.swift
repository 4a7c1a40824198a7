struct A {
    let b = """
func c() {
}
"""
    let d = 1
}
