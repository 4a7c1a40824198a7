let a = /[/{]"/
let b = 1
