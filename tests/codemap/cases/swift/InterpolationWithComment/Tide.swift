let a = "\(b /* ) " */)}"
let c = """
    \(d // ) "
    )
    """
let e = 1
