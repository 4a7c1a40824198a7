let a = /\/\*"/
let b = /[^\]"}]+/
let c = /(a|"){2}/
let d = 1
