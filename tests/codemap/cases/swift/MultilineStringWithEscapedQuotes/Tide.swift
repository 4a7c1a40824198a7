let a = """
    \""" not the end
    " "" \"
    """
let b = 1
