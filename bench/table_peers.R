# What R does with a table: answers one command a line with one number a line.
input <- file("stdin", "r")
repeat {
  words <- strsplit(readLines(input, 1), " ")[[1]]
  if (words[1] == "read") table <- read.csv(words[2]) else break
  cat(format(sum(table[[1]]), digits = 17), "\n", sep = "")
  flush(stdout())
}
