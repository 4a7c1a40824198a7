let a = """
// MARK: - no heading
// TODO: no note
/* no comment
"""
let b = 1
