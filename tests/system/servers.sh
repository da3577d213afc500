#!/bin/sh
# A real server in the folder where this starts, on loopback ports from <base> on: servers.sh <server> <base>. It has no right of root,
# and ends with the one who started it.
set -eu
server=$1 base=$2 home=$PWD
run="setpriv --pdeathsig KILL" user=$(id -un) group=$(id -gn)
if [ "$(id -u)" = 0 ]; then
    user=nobody group=nogroup
    run="$run --reuid=$user --regid=$group --clear-groups"
fi
start() { if [ "$user" = nobody ]; then chown -R $user:$group .; fi && exec $run "$@"; }

case $server in
nginx)
    new="-newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -batch" here=subjectAltName=DNS:localhost,IP:127.0.0.1
    openssl req -x509 $new -subj "/CN=Korvane test authority" -keyout authority.key -out authority.pem
    openssl req -x509 $new -subj /CN=localhost -addext $here -keyout unknown.key -out unknown.pem
    certify() { # <name> <its other names> <days>
        echo "$2" >names
        openssl req $new -subj /CN=localhost -keyout "$1.key" -out "$1.csr"
        openssl x509 -req -CA authority.pem -CAkey authority.key -CAcreateserial -in "$1.csr" -out "$1.pem" -extfile names -days "$3"
    }
    certify good $here 2
    certify expired $here -1
    certify other subjectAltName=DNS:other.example 2
    echo "operator:{PLAIN}open sesame" >users
    serve() { echo "server { listen 127.0.0.1:$1${2:+ ssl; ssl_certificate $2.pem; ssl_certificate_key $2.key}; include pages; }"; }
    { serve "$base" && serve $((base + 1)) good && serve $((base + 2)) expired && serve $((base + 3)) unknown &&
        serve $((base + 4)) other && serve $((base + 20000)); } >servers
    cat >pages <<END
        location = /page { return 200 "Welcome to Korvane\n"; }
        location = /private { auth_basic private; auth_basic_user_file users; echo "Hi, \$remote_user"; }
        location = /moved { return 302 /moved-again; }
        location = /moved-again { return 301 https://localhost:$((base + 1))/page; }
        location = /empty { return 200 ""; }
        location = /late { echo_sleep 60; echo "Welcome at last"; }
END
    cat >nginx.conf <<END
        load_module /usr/lib/nginx/modules/ngx_http_echo_module.so;
        daemon off; master_process off; pid nginx.pid; error_log output; events {}
        http {
            access_log off; default_type text/html;
            client_body_temp_path t; proxy_temp_path t; fastcgi_temp_path t; uwsgi_temp_path t; scgi_temp_path t; include servers;
        }
END
    start nginx -p "$home" -c nginx.conf -e output ;;
dovecot) # POP3, IMAP and SMTP for submission
    chmod 711 .
    echo "operator:{PLAIN}open sesame" >users
    listen() { printf 'service %s-login {\n chroot =\n inet_listener %s {\n  port = %s\n }\n}\n' "$1" "$1" "$2"; }
    {
        printf '%s\n' "protocols = pop3 imap submission" "listen = 127.0.0.1" "hostname = localhost" "ssl = no" \
            "submission_relay_host = 127.0.0.1" "log_path = /dev/stderr" "base_dir = $home/base" "state_dir = $home/state" \
            "default_internal_user = $user" "default_internal_group = $group" "default_login_user = $user" \
            "auth_mechanisms = plain login cram-md5" "service anvil {" " chroot =" "}" \
            "passdb {" " driver = passwd-file" " args = $home/users" "}"
        listen pop3 "$base" && listen imap $((base + 1)) && listen submission $((base + 2))
    } >dovecot.conf
    start dovecot -F -c "$home/dovecot.conf" ;;
esac
