let a = ""
let b = "" + "{"
let c = """
    """
let d = #""#
let e = 1
