let a = #"""
    """ is no end, \( neither { \#(b)
    """#
let c = 1
