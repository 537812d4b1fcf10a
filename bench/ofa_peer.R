# ofa_peer.R FILE.csv: seconds of R for the factor analysis of ordinal variables by full-information maximum
# likelihood with one factor, on the file that bench_ofa writes. lavaan's marginal ML (adaptive Gauss-Hermite
# quadrature) is used where it is installed; the same likelihood in plain vectorised R, maximised by optim with
# 21 fixed points as IRT packages do, always.
d <- read.csv(commandArgs(TRUE)[1])
n <- nrow(d); p <- ncol(d)
report <- function(name, job) {
  t <- system.time(value <- try(job, silent = TRUE))
  cat(sprintf("%-40s %8.2f s user %8.2f s  %s\n", name, t[["elapsed"]], t[["user.self"]],
              if (inherits(value, "try-error")) "failed" else format(value, digits = 12)))
}
if (requireNamespace("lavaan", quietly = TRUE)) {
  model <- paste("f =~", paste(names(d), collapse = " + "))
  report("lavaan, MML, probit", {
    fit <- lavaan::cfa(model, d, ordered = names(d), std.lv = TRUE, estimator = "MML", link = "probit")
    as.numeric(lavaan::fitMeasures(fit, "logl"))
  })
}
# Gauss-Hermite points from the recurrence's matrix.
m <- 21; e <- eigen(diag(0, m) + local({ J <- matrix(0, m, m); J[cbind(1:(m - 1), 2:m)] <- sqrt(1:(m - 1)); J + t(J) }), symmetric = TRUE)
x <- e$values; w <- e$vectors[1, ]^2
k <- max(d)
unpack <- function(t) { a <- matrix(t[seq_len(p * (k - 1))], p); for (j in seq_len(k - 1)[-1]) a[, j] <- a[, j - 1] + exp(a[, j]); list(a = a, b = t[p * (k - 1) + seq_len(p)]) }
logs <- function(t) { u <- unpack(t); s <- 0
  for (j in seq_len(p)) { F <- cbind(0, sapply(seq_len(k - 1), function(c) pnorm(u$a[j, c] - u$b[j] * x)), 1)
    s <- s + t(log(pmax(F[, -1] - F[, -(k + 1)], 1e-300)))[d[[j]], ] }
  s }
value <- function(t) -sum(log(exp(logs(t)) %*% w))
# Fisher's identity: the gradient is the posterior mean of the complete one.
gradient <- function(t) { u <- unpack(t); P <- exp(logs(t)) %*% diag(w); P <- P / rowSums(P); ga <- matrix(0, p, k - 1); gb <- numeric(p)
  for (j in seq_len(p)) { z <- sapply(seq_len(k - 1), function(c) u$a[j, c] - u$b[j] * x)
    F <- cbind(0, pnorm(z), 1); f <- cbind(0, dnorm(z), 0); Q <- F[, -1] - F[, -(k + 1)]
    r <- rowsum(P, factor(d[[j]], seq_len(k))); r <- t(r) / pmax(Q, 1e-300)
    for (c in seq_len(k - 1)) ga[j, c] <- sum(f[, c + 1] * (r[, c] - r[, c + 1]))
    gb[j] <- -sum(x * rowSums(r * (f[, -1] - f[, -(k + 1)]))) }
  g <- ga; for (c in rev(seq_len(k - 1))) g[, c] <- rowSums(ga[, c:(k - 1), drop = FALSE])
  for (c in seq_len(k - 1)[-1]) g[, c] <- g[, c] * exp(matrix(t[seq_len(p * (k - 1))], p)[, c])
  -c(g, gb) }
start <- { a <- t(sapply(d, function(y) qnorm(cumsum(tabulate(y, k))[-k] / n))) * 1.2; a[, -1] <- log(a[, -1] - a[, -(k - 1)]); c(a, rep(.8, p)) }
report("plain R, optim with gradient, standard errors", {
  fit <- optim(start, value, gradient, method = "BFGS", control = list(maxit = 500, reltol = 1e-10), hessian = TRUE)
  se <- sqrt(diag(solve(fit$hessian))); -fit$value
})
