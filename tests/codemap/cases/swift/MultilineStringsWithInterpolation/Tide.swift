let a = """
    \(items.map { item in
        "} \(item) \("""
            inner {
            """)"
    }.joined())
    """
func f() {}
