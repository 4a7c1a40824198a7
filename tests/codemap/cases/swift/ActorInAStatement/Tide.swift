actor.play()
let count = 1
