# Times the polychoric matrix of a file of ordinal items, and the asymptotic covariance matrix with it, by R's
# lavaan, for comparison with bench_engine on the same data:
#   bench_engine --codes items.csv ; Rscript bench/engine_peer.R items.csv
suppressPackageStartupMessages(library(lavaan))
items <- read.csv(commandArgs(TRUE)[1])
items[] <- lapply(items, ordered)
time <- function(what, job) cat(sprintf("%-44s %9.3f s\n", what, system.time(job)[["elapsed"]]))
time("lavaan: polychoric matrix", lavCor(items, ordered = names(items), se = "none"))
time("lavaan: the same and asymptotic covariances", {
  fit <- lavCor(items, ordered = names(items), se = "none", output = "fit", test = "none", WLS.V = TRUE)
  gamma <- lavTech(fit, "gamma")
})
