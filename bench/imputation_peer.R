# imputation_peer.R EM.csv MC.csv: seconds of R's packages for the same work as bench_imputation, on
# the files that it writes ("NA" is missing): EM for means and covariances (lavaan), five data sets
# of five iterations each by normal regressions (mice). Reading is not timed; a package that is not
# installed is left out.
a <- commandArgs(TRUE)
report <- function(name, times, job) cat(sprintf("%s %.4f\n", name, median(replicate(times, system.time(job())[["elapsed"]]))))
if (requireNamespace("lavaan", quietly = TRUE)) {
  x <- as.matrix(read.csv(a[1]))
  report("lavaan", 3, function() lavaan::lavCor(as.data.frame(x), missing = "fiml", output = "fit"))
}
if (requireNamespace("mice", quietly = TRUE)) {
  d <- read.csv(a[2])
  report("mice", 1, function() mice::mice(d, method = "norm", m = 5, maxit = 5, printFlag = FALSE))
}
