# ofa_peer.R FILE.csv [--points N] [--lavaan]: the factor analysis of ordinal variables by full-information maximum
# likelihood with one factor, on the file that bench_ofa --csv writes, in plain R: the EM algorithm on Gauss-Hermite points,
# 21 if nothing is said (R. D. Bock and M. Aitkin, Psychometrika 46, 1981, 443-459), written for this comparison in the way
# of a careful user: the cases in one matrix product a step, the items by Fisher's scoring. Of R's packages only lavaan has
# this likelihood, as MML; it needs 11 s of the processor for 200 cases of 4 items and finds no end at 2,000 of 10: only with
# --lavaan.
words <- commandArgs(TRUE)
if (length(words) == 0 || !file.exists(words[1])) stop("ofa_peer.R needs a file of bench_ofa --csv FILE")
d <- as.matrix(read.csv(words[1]))
n <- nrow(d); p <- ncol(d); k <- max(d)
say <- function(...) { cat(sprintf(...), "\n", sep = ""); flush(stdout()) }

# Gauss-Hermite points and weights of the normal distribution: eigenvalues of the recurrence's matrix.
at <- match("--points", words)
points <- if (is.na(at)) 21 else as.integer(words[at + 1])
off <- sqrt(seq_len(points - 1))
jacobi <- diag(0, points); jacobi[cbind(1:(points - 1), 2:points)] <- off; jacobi <- jacobi + t(jacobi)
e <- eigen(jacobi, symmetric = TRUE)
x <- e$values; w <- e$vectors[1, ]^2

say("%d cases of %d items with %d categories, one factor, %d points, %s", n, p, k, points, R.version.string)

# Each answer as a column of zeros and ones, the k of an item side by side.
answers <- do.call(cbind, lapply(seq_len(p), function(j) outer(d[, j], seq_len(k), "==") + 0))
items <- lapply(seq_len(p), function(j) (j - 1) * k + seq_len(k))

# theta: thresholds and slope of an item. Probabilities and their derivatives by theta, points by categories.
probabilities <- function(theta, F) { z <- outer(-theta[k] * x, theta[-k], "+"); G <- cbind(0, F(z), 1); G[, -1] - G[, -(k + 1)] }
derivatives <- function(theta, f) {
  g <- cbind(0, f(outer(-theta[k] * x, theta[-k], "+")), 0)
  D <- array(0, c(points, k, k))
  for (c in seq_len(k - 1)) { D[, c, c] <- g[, c + 1]; D[, c + 1, c] <- -g[, c + 1] }
  D[, , k] <- -x * (g[, -1] - g[, -(k + 1)])
  matrix(D, points * k)
}
expected <- function(thetas, F) {
  logs <- do.call(rbind, lapply(thetas, function(t) t(log(pmax(probabilities(t, F), 1e-300)))))
  joint <- exp(answers %*% logs) * rep(w, each = n)
  total <- rowSums(joint)
  list(logLikelihood = sum(log(total)), counts = crossprod(answers, joint / total))
}
score <- function(theta, counts, F, f) {
  P <- probabilities(theta, F)
  D <- derivatives(theta, f)
  inverse <- ifelse(P > 1e-14, 1 / P, 0)  # what is less holds no case, and is rounding
  list(gradient = crossprod(D, as.vector(t(counts) * inverse)),
       information = crossprod(D * as.vector(colSums(counts) * inverse), D))
}
em <- function(F, f, quantile, scale) {
  thetas <- lapply(seq_len(p), function(j) scale * c(quantile(cumsum(tabulate(d[, j], k))[-k] / n), .8))
  for (step in seq_len(2000)) {
    now <- expected(thetas, F)
    scores <- lapply(seq_len(p), function(j) score(thetas[[j]], now$counts[items[[j]], ], F, f))
    if (max(abs(unlist(lapply(scores, `[[`, "gradient")))) / n < 1e-7) break
    thetas <- Map(function(t, s) t + as.vector(solve(s$information, s$gradient)), thetas, scores)
  }
  # Observed information: differences of the gradient, which is that of the complete data (R. A. Fisher).
  slope <- function(t) {
    t <- split(t, rep(seq_len(p), each = k))
    counts <- expected(t, F)$counts
    unlist(lapply(seq_len(p), function(j) score(t[[j]], counts[items[[j]], ], F, f)$gradient))
  }
  at <- unlist(thetas)
  information <- -sapply(seq_along(at), function(i) { h <- replace(0 * at, i, 1e-4); (slope(at + h) - slope(at - h)) / 2e-4 })
  errors <- sqrt(diag(solve((information + t(information)) / 2)))
  list(steps = step, logLikelihood = now$logLikelihood, error = mean(errors[k * seq_len(p)]))
}
timed <- function(name, job) {
  t <- system.time(result <- job())
  say("%-28s %8.2f s, processor %8.2f s; %d steps, log-likelihood %.6f, mean s.e. of a slope %.5f", name, t[["elapsed"]],
      t[["user.self"]] + t[["sys.self"]], result$steps, result$logLikelihood, result$error)
}
timed("normal ogive, plain R", function() em(pnorm, dnorm, qnorm, 1.2))
timed("proportional odds, plain R", function() em(plogis, dlogis, qlogis, 1.2))

if (!"--lavaan" %in% words) quit()
if (!requireNamespace("lavaan", quietly = TRUE)) stop("lavaan is not installed (Debian: r-cran-lavaan)")
say("lavaan, MML, at work")
t <- system.time(fit <- lavaan::cfa(paste("f =~", paste(colnames(d), collapse = " + ")), as.data.frame(d),
                                    ordered = colnames(d), std.lv = TRUE, estimator = "MML", link = "probit"))
say("lavaan, MML                  %8.2f s, processor %8.2f s; log-likelihood %.6f", t[["elapsed"]],
    t[["user.self"]] + t[["sys.self"]], -lavaan::lavInspect(fit, "optim")$fx)
