// don't "stop
/* it's "open */ let a = 1
/// `{` and "}"
let b = 2 // "
